box
filein box.txt -noecho
hyd_parameters h=40 rho=1000 grav=9.81 symmetry=1
hyd_panel n=20
n=1 nodes=1,2,5,4 gen=1 inc=1,1 gen_2d=2 inc_2d=3,3 inc_el=2

hyd_rigid_modes
hyd_analysis -source -no_pot
hyd_analysis_response
hyd_surf_nodes #=1
1 9 9

/* The files hold the strengths of two classes
hyd_parameters h=40 rho=1000 grav=9.81
hyd_surf_elevation

box
hyd_surf_elevation
hyd_velocity del=1
phyd_velocity
filein box.txt -noecho
hyd_surf_elevation
hyd_surf_nodes #=3
1 8 0 0
3 0 -9 0.5

hyd_surf_elevation
hyd_analysis -source -no_pot
hyd_surf_elevation
hyd_analysis_response
hyd_surf_elevation rad=none
/* Wrong files: other lengths, other headings
hyd_surf_elevation dif=box.rad
hyd_surf_elevation rad=box.dif
cp .hyd_beta beta
scale .hyd_beta .hyd_beta v=2
hyd_surf_elevation radiation=0
dir .hyd_surf_disp
cp beta .hyd_beta
hyd_surf_elevation diffraction=0 radiation=0 rad=none
print .hyd_surf_disp
hyd_surf_elevation
hyd_velocity_nodes #=5
1 0 20 -10
n=3 y=20 z=-40 lgen=2

hyd_velocity_node_gen
linear=1,3
linear=1,9

hyd_velocity_nodes
4 12 0 1.5

phyd_velocity_nodes -screen
hyd_velocity del=0.5
hyd_velocity_node_tolerance
hyd_velocity_node_tolerance z_tol=0
hyd_velocity
hyd_velocity del=21
hyd_velocity del=.5,-1
hyd_velocity del=1e-20
hyd_velocity del=0.5 dif=box.rad
hyd_velocity del=0.5 rad=box.dif
hyd_velocity del=.5,.2 diffraction=0 radiation=0
print .hyd_vel_del
dir .hyd_vel6_xyz .hyd_vel_nodes .hyd_vel6pot
phyd_velocity -period
hyd_velocity del=0.5 -keep_pot
dir .hyd_vel6pot
hyd_velocity_nodes #=1
1

phyd_velocity
hyd_parameters h=40 symmetry=1
hyd_surf_elevation
hyd_velocity del=1
q

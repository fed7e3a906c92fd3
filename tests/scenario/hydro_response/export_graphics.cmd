job
hyd_export_graphics
hyd_export_graphics -Gmsh
hyd_parameters h=10 rho=1000
hyd_coordaxs
hyd_wave nbeta=1 nfreq=1 -freq
30
2
hyd_nodes #=9
1 0 0 0
2 0 0 -2
3 3 0 -2
4 3 0 0
5 0 0 1
6 3 0 1
8 6 0 -2

hyd_export_graphics -Gmsh file=none.msh
hyd_panel n=4
n=1 nodes=1,2,3,4
n=2 nodes=4,3,8
n=4 nodes=5,1,4,6

/* Panel 3 is not defined, 4 is dry, node 7 is not defined
hyd_export_graphics -Gmsh file=mesh.msh
hyd_export_graphics -Gmsh -wetonly -freesurface file=none.msh
hyd_surf_nodes #=4
1 0 9 0
2 5 9 0
4 5 3 0

hyd_surf_panel n=1
n=1 nodes=1,2,4

hyd_export_graphics -Gmsh -modes file=none.msh
/* Two modes: upward, and node 2 sideways
input up r=8 c=2
1 0
1 0
1 0
1 0
1 0
1 0
1 0
1 0
input side r=8 c=2
0 0
0 -0.5
0 0
0 0
0 0
0 0
0 0
0 0
cp up .hyd_umz
cp side .hyd_umy
zero .hyd_umx r=8 c=3
hyd_export_graphics -Gmsh -modes file=none.msh
zero .hyd_umx r=8 c=2
input labels r=1 c=2
7.5 4
hyd_export_graphics -Gmsh -modes T=up file=none.msh
hyd_export_graphics -Gmsh -displ freq=1 file=none.msh
hyd_export_graphics -Gmsh -displ freq=1 angle=1 file=none.msh
/* Modulus 2 at phase 90 degrees, and 1; one heading in two dimensions
inputc .hyd_gencor r=2 c=1
0 2
1 0
hyd_export_graphics -Gmsh -displ freq=2 angle=1 file=none.msh
hyd_export_graphics -Gmsh -displ freq=1 angle=0 file=none.msh
hyd_export_graphics -Gmsh -displ freq=1 angle=1 steps=0 file=none.msh
hyd_export_graphics -Gmsh -modes T=labels -displ freq=1 angle=1 steps=4 -wetonly -freesurface file=moving.msh
inputc .hyd_surf_disp r=4 c=1
1 0
0 1
0 0
0.5 0
hyd_export_graphics -Gmsh -displ freq=1 angle=1 steps=2 -freesurface -views file=views.msh
/* |p| = omega rho |phi|: phi = 1 + 2 + 3 (2i) on panel 1, 0.25 (1) on panel 2
inputc .hyd_potincm r=2 c=1
1 0
0 0
inputc .hyd_potdiff r=2 c=1
2 0
0 0
input3dc .hyd_potrad r=2 c=1 t=2
3 0
0 0
0 0
0.25 0
hyd_export_graphics -Gmsh -displ freq=1 angle=1 steps=2 -freesurface -views file=views.msh
hyd_parameters h=10 symmetry=1
hyd_export_graphics -Gmsh -displ freq=1 angle=1 steps=1 file=job2.msh
/* Time histories
input time r=3 c=1
0
0.5
1
zero ux r=3 c=8
zero uy r=3 c=8
ident uz r=3 c=8
ident eta r=3 c=4
hyd_export_graphics_th -vtk time ux uy uz
hyd_export_graphics_th time ux uy
hyd_export_graphics_th time ux uy eta t1=1
hyd_export_graphics_th time ux uy uz t1=3 t2=2
hyd_export_graphics_th time ux uy uz eta t1=2 t2=9 step=0
hyd_export_graphics_th -Gmsh time ux uy uz t1=-1 t2=3 step=2 file=hull.msh
rm .hyd_node_active
hyd_export_graphics_th time ux uy uz file=none.msh
q

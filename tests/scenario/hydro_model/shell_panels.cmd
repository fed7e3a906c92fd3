job
/* A box of shells: four sides and a bottom of min5s, one of the sides with its wet face inside out,
/* and a keel of min3s. Wet faces become panels.
hyd_parameters h=100
hyd_coordaxs
1 0 0 0 0

nodes #=40
n=1 x=-2 y=-1 z=-1
n=2 x=2 y=-1 z=-1
n=3 x=2 y=1 z=-1
n=4 x=-2 y=1 z=-1
n=5 x=-2 y=-1
n=6 x=2 y=-1
n=7 x=2 y=1
n=8 x=-2 y=1
n=9 z=-1.5

min5s m=1 n=9
m=1 e=200 g=80 nu=0.25 t=0.1
n=1 nodes=1,2,6,5 mat=1 face=1
n=2 nodes=2,3,7,6 mat=1 face=1
n=3 nodes=3,7,8,4 mat=1 face=-1
n=7 nodes=4,1,5,8 mat=1 face=1
n=9 nodes=5,6,7,8 mat=1

min3s m=1 n=4
m=1 e=200,200,200 g=80,80,80 nu=0.25,0.25,0.25 t=0.1
n=1 nodes=1,9,2 mat=1 face=1
n=2 nodes=2,9,3 mat=1 face=1
n=3 nodes=3,9,4 mat=1 face=1
n=4 nodes=4,9,1 mat=1 face=1

hyd_convert_fea_mesh
phyd_panel
hyd_body_check
quit

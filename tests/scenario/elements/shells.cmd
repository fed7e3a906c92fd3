job
/* A square of four cells, bent along x by the moments of its free edge: Mx = 3 (nu = 0).
nodes #=40
n=1
n=3 x=2 lgen=1
n=4 y=1
n=6 x=2 y=1 lgen=1
n=7 y=2
n=9 x=2 y=2 lgen=1

min3s m=1 n=2
m=1 e=200,200,200 g=100,80,80 nu=0,0,0 t=0.1 mass=5 C_s=0
n=1 nodes=1,2,4 mat=1
n=2 nodes=5,4,2 mat=1 print=1

shell3 m=1 n=2
m=1 e=200,200,200 g=100,80,80 nu=0,0,0 t=0.1 mass=5
n=1 nodes=2,3,5 mat=1
n=2 nodes=6,5,3 mat=1

min5s m=1 n=4
m=1 e=200 g=100 nu=0 t=0.1 mass=5
n=3 nodes=4,5,8,7 mat=1

min4t m=1 n=1
m=1 e=200 g=100 nu=0 t=0.1 mass=5
n=1 nodes=5,6,9,8 mat=1

bcid r=1,1,0,0,0,1
n=1 r=1,1,1,1,1,1
n=4 r=1,1,1,1,1,1
n=7 r=1,1,1,1,1,1

nodef
n=3 f=0,0,0,0,1.5
n=6 f=0,0,0,0,3
n=9 f=0,0,0,0,1.5

pmin3s
pshell3
pmin5s
pmin4t
form_k
lsolve
state
pdisp -screen
pstate
input min3s_lc r=1 c=3
0.5 0.5 0
input shell3_lc r=1 c=3
0 0 1
response
presponse
form_m -diag
mass_summary
export_graphics
fem_error
/* Six-node plates stand on their own.
nodes #=9
n=1
n=3 x=2 lgen=1
n=4 y=1
n=6 x=2 y=1 lgen=1
n=7 y=2
n=9 x=2 y=2 lgen=1

rm .elem_grp
rm gravity
min6 m=1 n=1
m=1 e=200 g=100 nu=0 t=0.1
n=1 nodes=1,3,9,2,6,5 mat=1

isomin6 m=1 n=1
m=1 e=200 g=100 nu=0 t=0.1
n=1 nodes=9,7,1,8,4,5 mat=1 pat=1 q=1,1,1,1,1,1

pmin6
pisomin6
bcid r=1,1,0,0,0,1
n=1 r=1,1,1,1,1,1
n=4 r=1,1,1,1,1,1
n=7 r=1,1,1,1,1,1

nodef
n=3 f=0,0,0,0,1
n=6 f=0,0,0,0,4
n=9 f=0,0,0,0,1

form_k -loads
load_summary
form_k -stiff
lsolve
state
pstate
export_graphics file=plate.msh
quit

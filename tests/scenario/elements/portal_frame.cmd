job
/* The portal of two columns (height 3) and a beam (length 5), its heads tied; see help of bcid, beam3d.
nodes #=4
n=1
n=2 z=3
n=3 x=5 z=3
n=4 x=5

bcid r=0,1,1,1,0,1
n=1 r=1,1,1,1,1,1
n=3 r=-2,1,1,1,0,1
n=4 r=1,1,1,1,1,1

beam3d m=1 n=3
m=1 e=210 g=80 a=0.5 j=0.3 iy=0.07 iz=0.07
n=1 nodes=1,2 mat=1 node3=-1
n=2 nodes=2,3 mat=1 node3=-3
n=3 nodes=3,4 mat=1 node3=-1

nodef
n=2 f=7

form_k
lsolve
state
pdisp -screen
pstate
quit

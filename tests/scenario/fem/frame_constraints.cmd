job
/* EA = 3000, EI = 300. Nodes 1 to 3: a cantilever of length 3 whose halves meet at the tied nodes 4
/* and 5; node 3 is linked to its end 2 by a rigid arm of 1, with a force of 3 along x. Nodes 6, 7: a
/* cantilever of length 2 whose end slides at 45 degrees.
nodes #=7
n=1
n=2 x=3
n=3 x=3 y=1
n=4 x=1.5
n=5 x=1.5
n=6 y=-5
n=7 x=2 y=-5

bcid
n=1 r=1,1,1,1,1,1
n=6 r=1,1,1,1,1,1

beam3d m=1 n=3
m=1 e=100 g=40 a=30 j=5 iy=3 iz=3
n=1 mat=1 nodes=1,4 node3=-3
n=2 mat=1 nodes=5,2 node3=-3
n=3 mat=1 nodes=6,7 node3=-3

merge_nodes -print
nodal_constraint
type=body c=3 r=2
type=general c=7 cdof=2 r=7 rdof=1 factor=1

nodef
n=3 f=3
n=7 f=16.125

form_k
lsolve
/* u(2) = 0.003, -0.045, rotation -0.03; u(3) = 0.033, -0.045; u(7) = 0.01, 0.01, rotation 0.0075
pdisp -screen form=(i5,3f12.7,f22.7,2f11.7)
quit

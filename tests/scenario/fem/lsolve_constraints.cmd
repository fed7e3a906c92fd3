job
/* Bars of EA/L = 300 and 200 that meet at tied nodes 2 and 3; a lever about node 6 on a bar of
/* EA/L = 75; a slider at 45 degrees at node 10 on a bar of EA/L = 200
nodes #=11
n=1
n=2 x=2
n=3 x=2
n=4 x=5
n=6 y=10
n=7 x=2 y=10
n=8 x=2 y=18
n=9 x=-4 y=10
n=10 x=3 y=30
n=11 y=30

bcid r=1,1,1,1,1,1
n=2 r=0,1,1,1,1,1
n=3 r=0,1,1,1,1,1
n=6 r=1,1,1,1,1,0
n=7 r=0,0,1,1,1,0
n=9 r=0,0,1,1,1,0
n=10 r=0,0,1,1,1,1

truss m=1 n=4
m=1 e=200 a=3
n=1 nodes=1,2 mat=1
n=2 nodes=3,4 mat=1
n=3 nodes=7,8 mat=1
n=4 nodes=10,11 mat=1

merge_nodes tol=0.1
nodal_constraint
type=body c=7 r=6
type=body c=9 r=6
type=general c=10 cdof=2 r=10 rdof=1

nodef
n=3 f=5
n=9 f=0,-1
n=10 f=2,2

form_k
load_summary
peqs
lsolve
pdisp -screen
lsolve k=1
lsolve k=2
lsolve -sparse
print .disp
quit

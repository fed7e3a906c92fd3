job
/* arrays changed by hand, and options out of range: a message, and the session goes on
nodes #=3
n=1
n=3 x=2 lgen=1

bcid r=0,1,1,1,1,1

peqs
mv .bcid keep
peqs
mv keep .bcid
mv .node_active keep
num_eqs
pnodes
nodes
pbcid
mv keep .node_active
seti .#nodes v=9
num_eqs
bcid
pnodes
seti .#nodes v=3
nodal_constraint maxnodes=10001
beam3d m=1 n=0
m=1 e=1 g=1 a=1

beam3d -cylinder mat=1 CxL=2,1
beam3d -cylinder mat=1 CxL=3,1 R=1,-1
zero points r=1 c=1
node_str points s n -x -y
truss m=1 n=2
m=1 e=9 a=1
n=1 nodes=1,2 mat=1 gen=1 inc=1

nodef
n=3 f=1

form_k
zeroi .node_eqs r=6 c=1
peqs
rm .node_eqs
num_eqs
lsolve k=2
eigval #=1 ss_size=2 -sparse
zero .disp r=3
zeroi .node_eqs r=6 c=2
export_graphics -deformed
seti .#nodes v=0
node_str points s n -x
quit

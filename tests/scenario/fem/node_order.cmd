job
node_order
nodes #=8
n=1
n=8 x=7 lgen=1

bcid r=0,1,1,1,1,1

node_order
truss m=1 n=5
m=1 e=1 a=1
n=1 nodes=1,6 mat=1
n=2 nodes=6,4 mat=1
n=3 nodes=4,2 mat=1
n=4 nodes=6,7 mat=1
n=5 nodes=7,3 mat=1

node_order -x
num_eqs
node_order -cm
printi .node_eq_order
num_eqs -#eqs
node_order
printi .node_eq_order
num_eqs -#eqs
peqns
form_k

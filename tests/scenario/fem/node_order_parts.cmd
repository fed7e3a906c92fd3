job
nodes #=7
n=1
n=7 x=6 lgen=1

bcid

truss m=1 n=3
m=1 e=1 a=1
n=1 nodes=1,3 mat=1
n=2 nodes=5,2 mat=1
n=3 nodes=7,6 mat=1

seti kept v=5
node_order

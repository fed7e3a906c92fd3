zero
/* A bar of EA/L = 300, then without stiffness: equation 1 is solved for, but not by a pivot
nodes #=2
n=1
n=2 x=1

bcid r=1,1,1,1,1,1
n=2 r=0,1,1,1,1,1

truss m=1 n=1
m=1 e=100 a=3
n=1 nodes=1,2 mat=1

nodef
n=2 f=6

form_k
lsolve
truss m=1 n=1
m=1 e=0 a=3
n=1 nodes=1,2 mat=1

form_k
lsolve
print .disp
quit

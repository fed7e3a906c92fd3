job
lsolve
/* Two bars of EA/L = 300 in line; node 3 moved by 0.02 in pattern 1, a force of 6 on node 2 in 2
nodes #=3
n=1
n=3 x=2 lgen=1

bcid r=0,1,1,1,1,1
n=1 r=1,1,1,1,1,1

truss m=1 n=2
m=1 e=100 a=3
n=1 nodes=1,2 mat=1 gen=1 inc=1

nodef
n=2 p=2 f=6

imposed_displ
n=3 dof=1 disp=0.02

form_k
lsolve digits=1
print .disp
print .load_pat
inputi load_comb r=2 c=1
1
1
form_k
lsolve
input load_comb r=3 c=1
1
1
1
lsolve
input load_comb r=2 c=3
1 0 2
0 1 -1
lsolve
print .disp
/* A pattern more than the imposed displacements have: they are left out, and node 3 is loaded
nodef
n=3 p=1 f=3

form_k
print .load_pat
input load_comb r=1 c=1
10
input .disp_inp r=4 c=1
3
1
0.02
0
lsolve k=1
print .disp
input .disp_inp r=3 c=1
1
1
0.5
lsolve
rm .kstr
lsolve
quit

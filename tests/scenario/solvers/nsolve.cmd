job
nsolve steps=1 tol=1e-6,1e-6 maxit=9
disp_cntl
/* A shallow truss of two bars, half span 10 and rise 1, pushed through its limit point
nodes #=3
n=1
n=2 x=10 z=1
n=3 x=20

bcid r=1,1,1,1,1,1
n=2 r=0,1,0,1,1,1

ntruss m=1 n=2
m=1 e=1e5 a=1
n=1 nodes=1,2 mat=1 gen=1 inc=1

nodef
n=2 p=1 f=0,0,-1

form_k
disp_cntl
2 1 0
2 2 1
n=2 dof=3 f=-1

nsolve steps=2 tol=1e-6,1e-6 maxit=20 k=-1 control=1 gdisp=0.4 dprin=1 fprin=1
print .dispcntl_history
pndisp n=2
/* The load alone, more than the truss bears here: no convergence
input load_comb r=1 c=1
30
nsolve steps=1 tol=1e-6,1e-6 maxit=2 dprin=2 fprin=2

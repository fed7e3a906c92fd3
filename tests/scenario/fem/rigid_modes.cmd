job
nodes #=4
1 1 2 3
2 4 2 3.5
3 4 6 1
4 -1 0 2

bcid

beam3d m=1 n=3
m=1 e=3 g=1 a=2 j=0.5 iy=1.5 iz=0.7 asy=1 asz=0.8 mbar=1
n=1 mat=1 nodes=1,2 node3=-3
n=2 mat=1 nodes=2,3 node3=-1
n=3 mat=1 nodes=1,4 node3=-2

form_k
rigid_modes psi cg=1,1,1
pmult .kstr psi force .kdiag_loc
/* Nothing but rounding beside a 1
zero one r=24 c=6 v=1
add one force sum
print sum
quit

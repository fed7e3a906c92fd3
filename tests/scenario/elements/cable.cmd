job
/* Two spans of different line, one of two segments, on a middle node that is free
nodes #=3
n=1
n=2 x=60 z=-25
n=3 x=120 z=4

bcid r=1,1,1,1,1,1
n=2 r=0,0,0,1,1,1

cable m=2 n=2 tol=1e-10 maxiter=50
m=1 e=2.1e11 a=1e-3 w=0,0,-80
m=2 e=1.e9 a=2e-3 w=0,0,-20
n=1 nodes=1,2 #segs=2
seg=2 mat=2 L=30
seg=1 mat=1 L=40
n=2 nodes=2,3
seg=1 mat=1 L=80
pcable
num_eqs
node_order
form_k
export_graphics
/* A line without weight is a bar, and says so
cable n=1
m=1 e=1000 a=1
n=1 nodes=1,3
seg=1 mat=1 L=100
pcable
elem_grp e=5 code=0
hyd_mooring_line
m=1 e=1.e11 a=5.e-3 w=0,0,-800
n=1 anchor=0,-60 end=280,-2
seg=1 mat=1 L=290
phyd_mooring_line
phyd_mooring_stiffness
hyd_parameters h=60 nmoder=6
hyd_assign_mooring
body=1 mooring=1 attach=20,0,-2 theta=180
body=1 mooring=1 attach=20,0,-2 T=0,-1,0,1,0,0,0,0,1

print hyd_kstr
elem_grp e=5 code=1
hyd_mooring_line

job
export_graphics
nodes #=7
1
n=2 x=10
4 5 8.660254037844386
n=5 5 z=1

export_graphics file=mesh0.msh
truss m=1 n=3
m=1 e=2e11 a=1e-3
n=1 nodes=1,2 mat=1
n=2 nodes=2,4 mat=1
n=3 nodes=4,1 mat=1

ntruss m=1 n=1
m=1 e=2e11 a=1e-3
n=1 nodes=1,5 mat=1

export_graphics -Gmsh
export_graphics -Other
export_graphics -deformed
inputi .node_eqs r=6 c=5
0 1 0 2 5
0 0 0 3 6
0 0 0 4 7
0 0 0 0 0
0 0 0 0 0
0 0 0 0 0
export_graphics -deformed file=never.msh
input .disp r=7 c=3
0.1 1 0
0.2 0 0
0 -2 0
0 0 0
0 0 0
0.03 0 0
0.04 1 0
export_graphics -deformed file=cases.msh
input periods r=1 c=3
8.25 4 0.5
export_graphics -deformed case=2 scale=10 T=periods file=case2.msh
export_graphics -deformed -autoscale steps=4 file=cycle.msh
export_graphics -deformed -autoscale case=3 file=never.msh
export_graphics -deformed case=4 file=never.msh
export_graphics -deformed case=0 file=never.msh
export_graphics -deformed T=times file=never.msh
export_graphics -deformed steps=2 case=1 T=periods file=never.msh
export_graphics -deformed T=periods case=3 steps=3 -autoscale scale=1e300 file=never.msh
input periods r=1 c=2
8.25 4
export_graphics -deformed T=periods file=never.msh
export_graphics -deformed steps=-1 case=1 file=never.msh
export_graphics -deformed steps=2 case=1 T=periods -autoscale scale=10 file=half.msh
elem_grp e=29 code=0
export_graphics file=ntruss.msh nsymm=1
ls $*
export_graphics file=no/such/folder.msh reflect=1
nodes #=3

export_graphics file=never.msh
nodes
1

export_graphics -deformed -autoscale file=never.msh
inputi .node_eqs r=6 c=3
1 1 1
1 1 1
1 1 1
1 1 1
1 1 1
1 1 1
export_graphics -deformed -autoscale file=never.msh
inputi .node_eqs r=6 c=3
-1 1 1
1 1 1
1 1 1
1 1 1
1 1 1
1 1 1
export_graphics -deformed file=never.msh
quit

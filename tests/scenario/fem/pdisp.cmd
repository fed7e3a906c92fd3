job
pdisp
nodal_disp d
pndisp n=1
nodes #=6
1
2 x 2
n=3 x=4
5 6

bcid
n=1 r=1,1,1,1,1,1
n=2 print=0
n=3 r=0,0,0,1,1,1

nodal_constraint
type=general c=5 cdof=1 r=2,3 rdof=1,2 factor=2,-0.5

pdisp
num_eqs
pdisp
nodal_disp
input .disp r=14 c=2
0.001 -1
0.002 -1
0.003 -1
0.004 -1
0.005 -1
0.006 -1
0.007 -1
-0.008 -1
0.009 -1
0.010 -1
1.1e-11 -1
1.2e100 -1
0.013 -1
0.014 -1
pdisp -screen
pdisp nodes=2,3 form=(i5,6f9.3) -screen -file
pdisp nodes=3,1 form=i5 -screen -file -append
pdisp nodes=7 -screen
pdisp form=(i5,6q9.3) -screen
pdisp form=(6f9.3) -screen
pdisp form=(7i9) -screen
nodal_disp d
print d
nodal_disp d nodes=0,3 -node#
print d
nodal_disp d nodes=5,2
ls d
zero .disp_history r=16 c=3
input some r=4 c=3
1 1 2
1 2 1
0 0 0
1 2 3
put some .disp_history
input some c=3
-8 -9 -10
put some .disp_history r=10
pndisp n=2
pndisp n=5
pndisp n=1
pndisp
pndisp n=7
rm .disp_history
zero u r=14 c=2
input some c=2
1 2
put some u
input some c=2
-8 -9
put some u r=8
input t r=1 c=2
0 0.25
pndisp_th n=5 u t
pndisp_th n=5 u u
pndisp_th n=5 u v
pndisp_th n=9 u t
input t r=2 c=2
1 2
3 4
pndisp_th n=2 t u
inputi .node_eqs r=6 c=6
1 1 1 1 1 15
2 2 2 2 2 2
3 3 3 3 3 3
4 4 4 4 4 4
5 5 5 5 5 5
0 0 0 0 0 -2
pdisp
nodal_disp d2
ls d2
quit

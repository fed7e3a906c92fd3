job
hyd_parameters h=100
hyd_nodes #=4
1 0 0 -1
2 1 0 -1
3 1 1 -1
4 0 1 -1

input .hyd_xyz r=3 c=4
0 1 1 0
0 0 nan 1
-1 -1 -1 -1
hyd_panel n=1
1 1 2 3 4


quit

job
hyd_convert_fea_mesh
hyd_parameters h=100
nodes #=9
1 0 0 -1
2 1 0 -1
3 1 1 -1
4 0 1 -1
5 2 0 -1
6 2 1 -1
7 3 0 -1

hyd_convert_fea_mesh
inputi .interface_el r=8 c=2
1 2
2 5
3 6
4 6
0 0
0 0
0 0
0 0
hyd_convert_fea_mesh
inputi .interface_el r=8 c=3
1 2 1
2 5 2
3 6 3
4 6 4
0 0 0
-1 1 0
2 1 9
0 0 0
inputi .min5s_el r=9 c=1
5
7
6
3
0
0
0
1
0
inputi .min3s_el r=12 c=1
5
7
6
0
0
0
0
0
1
0
0
0
hyd_convert_fea_mesh
phyd_panel
phyd_nodes -screen
inputi .interface_el r=8 c=2
1 2
2 5
3 6
4 6
0 0
-1 1
2 2
0 0
hyd_convert_fea_mesh
phyd_panel -wet_only
quit

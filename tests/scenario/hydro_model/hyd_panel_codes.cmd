job
/* nodes of a wall x = 1 from z = -2 to 2, of a lid z = 0 and of a panel in y > 0
/* wet; touching; dry and touching; dry; half; V; E; in the water plane; triangles
hyd_nodes #=30
1 1 1 -2
2 1 -1 -2
3 1 1 -1
4 1 -1 -1
5 1 1 0
6 1 -1 0
7 1 1 1
8 1 -1 1
9 1 1 2
10 1 -1 2
11 3 1 0
12 3 -1 0
13 5 1 -1
14 5 0 -1
15 5 0 0
16 5 1 0

hyd_parameters h=100
hyd_panel
hyd_panel n=2000000000
hyd_panel n=12
1 1 2 4 3
2 3 4 6 5
3 5 6 8 7
4 7 8 10 9
5 3 4 8 7
n=6 nodes=1,2,8,7
n=7 nodes=3,4,10,9
8 5 11 12 6
10 1 2 4
12 13 14 15 15

phyd_panel
phyd_panel -wet_only
hyd_panel_rmap
print .hyd_panel_rmap
print .hyd_paneltype
print .hyd_panela
hyd_parameters h=100 symmetry=1
hyd_panel n=3
1 1 2 4 3
2 13 14 15 16
3 2 6 12

phyd_panel
hyd_parameters h=100 symmetry=2
hyd_panel n=2
1 1 2 4 3
2 2 6 12

phyd_panel
hyd_parameters h=100 symmetry=3
hyd_panel n=1
1 1 2 4 3

quit

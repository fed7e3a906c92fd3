job
hyd_parameters h=100
hyd_nodes #=15
1 0 0 0
5 4 0 0 1
11 0 0 -2
15 4 0 -2 1

hyd_node_gen
quad=1,5,11,15 inc=1,5

phyd_nodes -screen
hyd_panel n=9
n=1 nodes=1,2,7,6 inc=1,1 gen=3 inc_2d=5,5 gen_2d=1 inc_el=5

phyd_panel
hyd_panel n=8
1 1 2 7 6 1 1 3 5 5 1

phyd_panel
quit

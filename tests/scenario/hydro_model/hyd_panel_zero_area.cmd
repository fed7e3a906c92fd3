job
hyd_parameters h=100
hyd_nodes #=4
1 0 0 -1
2 1 0 -1
3 2 0 -1
4 3 0 -1

hyd_panel n=1
1 1 2 3 4


quit

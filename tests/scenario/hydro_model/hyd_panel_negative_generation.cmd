job
hyd_parameters h=100
hyd_nodes #=4
1 0 0 -1
2 1 0 -1
3 1 1 -1
4 0 1 -1

hyd_panel n=2
1 1 2 3 4 1 1 -5


quit

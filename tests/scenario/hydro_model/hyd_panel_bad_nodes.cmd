job
hyd_parameters h=100
hyd_nodes #=10
1 0 0 -1
2 1 0 -1
3 1 1 -1
4 0 1 -1
7 0 2 -1

hyd_panel n=5
1 1 2 3 4
2 1 2 1 4
3 1 2 8 4
4 1 2 5 4
5 1 2 0 0


quit

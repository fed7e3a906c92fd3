job
hyd_parameters h=100
hyd_nodes #=4
1 0 0 -1
2 1 0 -1
3 1 1 -1
4 0 1 -1

hyd_panel n=2
n=1 nodes=1,2,3,4 gen_2d=1 inc_el=-2147483648


quit

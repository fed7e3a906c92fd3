job
hyd_node_tolerance
hyd_nodes #=6
1 0.0005 -0.0005 0.0005
2 -0.0005 0.002 -0.002
4 0 0 0

hyd_node_tolerance
hyd_parameters h=10
hyd_node_tolerance z_tol=1e-9
hyd_parameters h=10 symmetry=1
hyd_node_tolerance z_tol=-1
phyd_nodes -screen
hyd_parameters h=10 symmetry=2
hyd_node_tolerance
hyd_node_tolerance y_tol=0.01 z_tol=0.01
hyd_node_tolerance
quit

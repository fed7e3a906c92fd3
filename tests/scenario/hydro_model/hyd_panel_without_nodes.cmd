job
hyd_parameters h=100
hyd_panel n=5

quit

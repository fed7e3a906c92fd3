job
nodes #=3
1e300 0 0 0

quit

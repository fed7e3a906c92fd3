job
nodes #=10
n=1 x=1
n=2 x=nan

quit

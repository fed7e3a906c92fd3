job
nodes #=10
n=10 x=1
n=11 x=2

quit

job
/* no list yet
nodes
node_gen
pnodes
nodes #=2000000000
/* keys, plain numbers, generation; node # is accepted
nodes #=20
n=1
n=5 x=4 lgen=1
n=9 x=8 lgen=2
n=12 x=11
11 10 0 0 -1
20 1 2 3

pnodes -screen
/* changing and adding
nodes
5 4 4 0
8 7 1 0

pnodes nodes=4,8 -screen
pnodes nodes=9 -screen
pnodes nodes=30,40 -screen
pnodes nodes=-3,1 -screen
/* lines and quadrilaterals
nodes #=30
1
5 15 0 0
21 0 10 0
25 15 10 0
30 0 0 1

node_gen
linear=1,5 w=2
quad=1,5,21,25 inc=0,10
linear=30,26 inc=-2

pnodes -screen
node_gen
linear=1,31

node_gen
quad=1,5,21,25 inc=1,-10

node_gen
linear=1,30 w=1e300

nodes #=3
1 -1e308 0 0
3 1e308 0 0 1

quit

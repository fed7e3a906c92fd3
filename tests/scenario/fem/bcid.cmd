job
bcid
nodes #=8
1
6 5 0 0 1
8 7 0 0

pbcid
bcid #=4 r=0,0,1,1,1 print=7
n=2 r=1
n=6 r=0,-2,0,0,0,1 print=0 inc=2
n=8
n=0 r=1,1,1,1,1,1
pbcid
bcid #=8 r=1,2,3,4,5,6,7,8

pbcid
bcid #=2147483647
ls
bcid
n=9

quit

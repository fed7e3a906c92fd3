job
node_str pts avg
node_str pts avg num -x
nodes #=9
n=1
n=3 x=2 lgen=1
4 0 1
5 1 1
7 2 1 0.5
8 -3

node_str pts avg num -x
input pts r=7 c=4
0 0 1 10
1 0 2 20
1 1e-9 4 40
0 1 8 80
1 2 16 160
2 1 32 320
-3 0 64 640
node_str pts avg num n=1
1

node_str avg avg num -x
node_str pts avg num -x -y
print avg
print num
node_str pts avg2 num2 -x -y tol=0.6 n=3
node=7
1 1 1

print avg2
print num2
node_str pts avg num -z
node_str pts avg num -y n=1
5

ls
node_str pts avg num -x n=2

node_str pts avg num -x n=2
1 4 1
2

quit

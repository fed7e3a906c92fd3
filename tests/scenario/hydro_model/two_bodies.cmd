twins
hyd_parameters h=50 nbodies=2 rho=1000 grav=10
hyd_coordaxs xb=-20 zcg=-1
hyd_coordaxs body=2 xb=20 theta=90 zcg=-1
hyd_nodes #=16
1 -25 -2 -4
2 -15 -2 -4
3 -15 2 -4
4 -25 2 -4
5 -25 -2 0
6 -15 -2 0
7 -15 2 0
8 -25 2 0
9 15 -2 -6
10 25 -2 -6
11 25 2 -6
12 15 2 -6
13 15 -2 0
14 25 -2 0
15 25 2 0
16 15 2 0

hyd_panel n=10
1 1 2 3 4
2 2 1 5 6
3 3 2 6 7
4 4 3 7 8
5 1 4 8 5
6 9 10 11 12
7 10 9 13 14
8 11 10 14 15
9 12 11 15 16
10 9 12 16 13

hyd_body_check body=2 nodes=9,16 panels=6,10
hyd_rigid_modes body=1 nodes=1,8 panels=1,5
hyd_rigid_modes body=2 nodes=9,16 panels=6,10
printf .hyd_un
hyd_rmass body=2
1 0 0 0 0 0
0 2 0 0 0 0
0 0 3 0 0 0
0 0 0 4 0 6
0 0 0 0 5 0
0 0 0 6 0 7
ident hyd_psi r=12
hyd_genmodes 1=S
print hyd_mstr r=10 c=10
hyd_body_check panels=1,11
q

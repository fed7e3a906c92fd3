barge
hyd_parameters h=20 symmetry=1 nmodef=2 rho=1000 grav=10
hyd_coordaxs zb=-2 zcg=0.5
hyd_nodes #=21
1 0 -1 0
2 -10 0 -4
3 -5 0 -4
4 0 0 -4
5 5 0 -4
6 10 0 -4
7 -10 3 -4
8 -5 3 -4
9 0 3 -4
10 5 3 -4
11 10 3 -4
12 -10 3 1
13 -5 3 1
14 0 3 1
15 5 3 1
16 10 3 1
17 -10 3 0
18 -5 3 0
19 0 3 0
20 5 3 0
21 10 3 0

hyd_nodes
12 -10 0 0
16 10 0 0

hyd_panel n=10
1 2 3 8 7 1,1 3
5 7 8 18 17 1,1 3
9 2 7 17 12
10 6 16 21 11

hyd_body_check
hyd_rigid_modes
filein modes
hyd_wave nfreq=2 nbeta=1
0
5 10
hyd_wave_dispersion
hyd_wave -delete nfreq=1
7
hyd_wave -delete nfreq=2
q

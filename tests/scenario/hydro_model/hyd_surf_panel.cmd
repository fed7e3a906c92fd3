job
hyd_parameters h=10
hyd_surf_nodes #=7
1 0 0 0.0001
2 0 2 0
3 4 2 1
4 4 0 0
5 8 2 0
6 8 0 0
7 10 1 0

hyd_surf_node_tolerance
phyd_surf_nodes -screen
hyd_surf_panel n=4
1 1 2 3 4
2 4 3 5 6
4 6 5 7

phyd_surf_panel
hyd_surf_panel -subdivide range=0,1 nxm=2,2
hyd_surf_panel -subdivide range=1,9 nxm=2,2
hyd_surf_panel -subdivide nxm=2,0
hyd_surf_panel -subdivide nxm=100000,100000
hyd_surf_panel -subdivide nxm=1,1
phyd_surf_panel
hyd_surf_panel -subdivide range=1,2 nxm=2,3
hyd_surf_panel -subdivide range=4,4 nxm=2,2
phyd_surf_nodes -screen
phyd_surf_panel
print .hyd_surf_paneltype
elem_grp e=38 code=1
ls
quit

job
merge_nodes
nodes #=9
1
2 1 0 0
3 0 0 1e-9
4 1 0.0005 0
5 0 0 0
7 1 0 0
8 1 0 0.0005
9 1 0 0.0012

merge_nodes
bcid r=1

merge_nodes -noprint
pbcid
bcid

merge_nodes xtol=0 ytol=0.001 ztol=0
merge_nodes tol=0.001 -print
pbcid
quit

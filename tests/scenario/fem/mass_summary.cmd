job
mass_summary
/* Masses of 2 at (1,0,0) and of 6 at (0,3,1), the latter with an inertia of its own; node 3 is tied
/* to node 2, and node 4 a link of node 1 without mass. About (1,0,0) the first mass turns freely.
nodes #=4
n=1 x=1
n=2 y=3 z=1
n=3 y=3 z=1
n=4 x=9

bcid

merge_nodes -print
nodal_constraint
type=body c=4 r=1

nodef

form_k
mass
n=1 m=2,2,2
n=2 m=4,4,4,1
n=3 m=2,2,2

mass_summary
form_m -diag
mass_summary -save
form_m
mass_summary shift=1,0,0
print .mass_summary6x6
print .mass_summaryCG
seti .#eqs v=2147483647
mass_summary
quit

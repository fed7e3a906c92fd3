job
pnodef
pimposed_displ
pmass
pdampers
imposed_displ
initial_conditions v
nodes #=6
n=1
n=5 x=4 lgen=1

bcid r=0,0,0,0,0,0
n=5 r=1,1,1,1,1,1

nodef

pnodef
num_eqs
form_k -loads
get_dim .load_pat dims
printi dims
nodal_constraint
type=body c=3 r=1
type=general c=4 cdof=2 r=4 rdof=1 factor=-0.5

nodef
n=2 p=1 f=1,2,3
2 2 0 0 0 0.5
n=2 f=10
n=5 p=2 f=7,7,7,7,7,7
n=3 p=2 f=0,1
n=4 f=0,8

pnodef
form_k -loads
peqs
print .load_pat
load_summary
imposed_displ
n=4 dof=3 disp=4,5
n=2 dof=1 disp=1,2
n=2 dof=7 disp=9
n=5 dof=1 disp=9
n=2 dof=1 disp=3

pimposed_displ
mass
n=1 m=1,1,1,0,0,2
n=4 m=2,2,2 inc=2

pmass
dampers -noecho
n=1 c=5
n=3 c=6 inc=1

pdampers
form_c -diag
print .cstr
initial_conditions
initial_conditions v -noecho
n=1 u=1,2,3,4,5,6
n=4 u=7,8,9 inc=1
n=4 u=7,8,-9

print v
nodal_pressure
n=all pat=3 p=2.5
n=3 pat=1 -hydro density=-2 z=-1
n=2,4,2 pat=1 -hydro density=2 z=-1 -no_negative

print .nodal_pressure
printi .nodal_pressure_pat
quit

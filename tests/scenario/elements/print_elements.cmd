job
nodes #=12
n=1
n=3 x=6 lgen=1
n=4 y=4
n=6 x=6 y=4 lgen=1

bcid
n=1 r=1,1,1,1,1,1

truss m=2 n=3 -kg
m=1 e=200 a=0.5 mbar=3
m=2 e=1e3 a=2 -no_compression
n=1 nodes=1,2 mat=1 gen=1 inc=1 tension=7
n=3 nodes=1,4 mat=2 Lo=3.2 print=1 ecc1=0,0,1 ecc2=0,0,1

ntruss m=1 n=1
m=1 e=200 a=0.5
n=1 nodes=1,5 mat=1 ecc2=0,0.5,0

beam3d m=1 n=2
m=1 e=210 g=80 a=0.5 j=0.3 iy=0.07 iz=0.11 asy=0.2 mxyz=1,2,3 mI=4,5,6 cbar=7
n=1 nodes=1,2 mat=1 node3=4 gen=1 inc=1 inc2=0 tension=10 tension_last=20

nbeam2d m=1 n=2 -xz
m=1 e=210 g=80 a=0.5 i=0.07 as=0.1 wbar=9 mbar=2 mI=3 Cm=4,5 Cd=6,7
n=1 nodes=4,5 mat=1
n=2 nodes=5,6 mat=1 -xy print=1 tension=5

interface n=9
n=2 nodes=1,2,5,4 gen=1 inc=1,1 face=-1
n=9 nodes=1,5,4 print=1

ptruss
pntruss
pbeam3d
pnbeam2d
pinterface
num_eqs
zero .disp r=30
state
pstate
presponse -file
elem_grp e=4
export_graphics
fem_error
quit

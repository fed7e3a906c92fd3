job
state
pstate
nodes #=3
1
n=2 x=4
n=3 x=4 y=3

truss m=1 n=2
m=1 e=1000 a=2
n=1 nodes=1,2 mat=1
n=2 nodes=1,3 mat=1 print=1

ntruss m=1 n=1
m=1 e=1000 a=2
n=1 nodes=2,3 mat=1

bcid
n=1 r=1,1,1,1,1,1
n=2 r=0,1,1,1,1,1
n=3 r=0,0,1,1,1,1

state
num_eqs
zero .disp r=3
pdisp
input .disp r=3 c=2
0.004 9
0 9
0.005 9
state
print .f_internal
ls $*
pstate
response
presp -file
presponse -file -append
system_command 'wc -c job.tr job.ntr'
rm .disp
state
quit

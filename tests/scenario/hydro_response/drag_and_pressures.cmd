box
filein box.txt -noecho
hyd_analysis
nodes #=2
1 0 0 -1
2 5 0 -2

bcid

truss m=1 n=1
m=1 e=1e9 a=1
n=1 mat=1 nodes=1,2

num_eqs
rigid_modes psi
zero cd r=12 v=2e4
hyd_analysis_response_drag cd psi beta=2 conv=.1 wave=1.5 maxit=20
hyd_analysis_response_drag cd psi beta=2 conv=.1 -structure_velocity_only -each
hyd_modal_pressure digits=3
hyd_postresponse -disp -potential -pressure
input hyd_Peiwt r=1 c=6
0 0 1e4 0 0 0
hyd_analysis_response_P -residual -eq
hyd_postresponse_P -pressure
rm .hyd_gencor
hyd_postresponse_P
hyd_postresponse

box
filein box.txt -noecho
hyd_analysis -no_pot
input hyd_Peiwt r=1 c=6
0 0 1e4 0 0 0
hyd_analysis_response_P -residual -eq
q

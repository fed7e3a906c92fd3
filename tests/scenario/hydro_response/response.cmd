box
filein box.txt -noecho
hyd_analysis -no_pot
hyd_analysis_response -residual symmetrize=ON -no_gencor
print .hyd_rhs
print .hyd_gencor t=2
rm hyd_cstr
hyd_analysis_response symmetrize=on
hyd_tf
hyd_tf hyd_modemat two ext=per -period -RAO -radians
input m r=1 c=5
1 2 3 4 5
hyd_tf m
hyd_tf nosuch
inputi im r=1 c=6
1 2 3 4 5 6
hyd_tf im
dir hyd_tf two hyd_modemat
zero z r=6 c=6
invert z hyd_kstr
hyd_analysis_response
rm .hyd_gencor
hyd_tf
q

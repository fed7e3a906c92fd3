box
filein box.txt -noecho
hyd_analysis
series numbers x=1,400000 max=400000
to_int numbers .hyd_panel_#map
hyd_analysis #added_freqs=1
.6
print .hyd_freq
ll .hyd_potrad
q

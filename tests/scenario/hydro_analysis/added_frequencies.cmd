box
filein box.txt -noecho
hyd_analysis -source
hyd_analysis #added_freqs=2 -periods -source
12 7
hyd_analysis #added_freqs=1 -source
.6
print .hyd_freq
hyd_analysis #added_freqs=1 -no_pot -source
2
print .hyd_twnk
dir .hyd_potrad
q

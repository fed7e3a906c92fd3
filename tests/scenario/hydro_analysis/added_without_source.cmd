box
filein box.txt -noecho
hyd_analysis -no_pot
hyd_analysis #added_freqs=1 -source
.5

box
filein box.txt -noecho
hyd_analysis -source
hyd_analysis #added_freqs=1 -source
.6
print .hyd_freq
ll .hyd_addm
q

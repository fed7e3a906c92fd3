box
filein box.txt -noecho
hyd_analysis #added_freqs=1
.5

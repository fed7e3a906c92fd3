box
filein box.txt -noecho
hyd_analysis
hyd_analysis #added_freqs=2 -periods
5 0

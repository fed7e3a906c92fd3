box
filein box.txt -noecho
rm hyd_mstr
hyd_analysis -no_pot
hyd_analysis_response

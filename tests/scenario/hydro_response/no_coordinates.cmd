box
filein box.txt -noecho
hyd_postresponse_P
hyd_postresponse -potential

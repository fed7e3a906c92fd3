boxes
filein
q

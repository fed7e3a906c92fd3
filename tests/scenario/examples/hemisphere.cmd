hemisphere
filein
q

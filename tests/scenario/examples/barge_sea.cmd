barge_sea
filein
q

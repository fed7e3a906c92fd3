barge
filein
q

flexible_barge
filein
q

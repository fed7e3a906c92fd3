first
seti a v=1
filein change.txt
ll
logfile -off
unlogged
logfile
logged
q

sys
date today
date -noprint
date now -noprint
get_dim now n
time t0
time t1 t0 t2
time t1 absent t3
time
dir
rename_file none other
rename_file a.txt b.txt
rename_file b.txt
rm_file none
rm_file old -ext
rm_file
term
term 'echo "from the shell"'
flush
flush unit=77
q

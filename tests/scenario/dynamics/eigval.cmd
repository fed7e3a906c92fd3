job
eigval
/* A chain of four masses between walls: omega^2 = 4 sin^2(i pi/10)
seti .#eqs v=4
eigval
input full r=4 c=4
2 -1 0 0
-1 2 -1 0
0 -1 2 -1
0 0 -1 2
ftopro full .kstr .kdiag_loc
zero .mstr r=3 v=1
eigval
zero .mstr r=4 v=1
eigval minv=1 -freq
print .omega
eigval #=2 ss_size=3 shift=0.5 digits=4 -random
print .omega2
print .phi
/* The shift has stayed
ptoful .kstr full .kdiag_loc
print full
eigval #=2 -sparse
eigval #=1 ss_size=2 rigid=1,0,0,0,0,0
eigval #=1 ss_size=2 digits=12 maxit=2

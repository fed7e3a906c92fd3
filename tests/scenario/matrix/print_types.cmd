run
inputc z r=2 c=4
1 1 0 -2 3 4 1e-120 5e120
-1 0 0 0 6 8 nan inf
print z
printf z cols=2 -phase
xprint z c=2
inputi i r=2 c=13
1 -2 3 99999 1000000 6 7 8 9 10 11 12 13
1
p i
xp i
input x r=1 c=3
2.9999999999 -7.5 1e12
printi x
xp x cols=2
setch s s='two words'
print s
inputch s r=2 c=6 -null
abcd
efghijk
pf s c=2
input3d t r=1 c=2 t=2
1 2
3 4
print t
print t table=2 form=('v',2f8.3)
zero d r=2 c=2
print d form=(2(f8.2,',')) -nohead cols=1
quit

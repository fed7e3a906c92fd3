run
zeroi a r=5 c=1
print a l=2

q
filein pages.txt
quit
seti b v=2
print a l=6 -f
print b
quit

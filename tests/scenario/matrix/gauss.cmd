gss
input a r=3 c=3
0 2 1
1 1 1
2 4 -2
input b r=3
3
4
0
cp a f
cp b x
gauss f x
cp a f
cp b x
gauss f x -pp
print x
print f
/* 1 - 0.9999999 loses eight digits
input x r=2
1
2
input c r=2 c=2
1 1
0.9999999 1
cp c f
gauss f x
cp c f
gauss f x #digits=8 -pp
cp c f
gauss f x #digits=9
/* singular, by the row order too
zero s r=2 c=2 v=1
ident u r=2 c=2
gauss s u -pp
/* its own right-hand side, and an inverse in place
cp a f
gauss f f -pp
print f
input a r=2 c=2
4 7
2 6
cp a h
invert h h
print h
invert a h
print a
inputc z r=2 c=2
1 1 2 0
0 1 1 -1
cp z w
invert w v
print v
gauss a b
gauss v a
gauss b b
invert b v
invert
identi k r=2 c=2
gauss k k
invert k v
setr one v=4
invert one v
print v
ls $*
quit

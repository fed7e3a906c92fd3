prof
/* the upper triangle alone is read
input full r=4 c=4
4 1 0 2
9 5 0 0
9 9 3 0
9 9 9 6
ftopro full a loc
printi loc
print a
ptoful a back loc
print back
input x r=4 c=2
1 0
2 1
-1 2
3 -2
pmult a x b loc
print b
psolve a b loc
print b
/* digits
input full r=2 c=2
1 0.999
0 1
ftopro full a loc
input b r=2
1
1
psolve a b loc digits=2
ftopro full a loc
psolve a b loc digits=3
/* complex symmetric
inputc z r=2 c=2
2 1 0 1
0 1 3 -1
ftopro z za zloc
inputc zx r=2
1 1
2 -1
pmult za zx zx zloc
psolve za zx zloc
print zx
/* order 1 is divided by, and nothing else
setr s v=4
setr t v=8
inputi l r=2
1
2
psolve s t l
print t
/* refused
psolve a b
psolve a none loc
psolve a z loc
psolve a b b
psolve a x loc
seti q v=1
psolve l q l
inputi bad r=3
1
2
9
psolve a b bad
pmult a b c
pmult a x c loc
pmult a zx c loc
pmult l q c l
pmult a b c bad
ptoful a c
ptoful loc c loc
ptoful none c loc
ptoful a c bad
ptoful a c b
ftopro x c d
ftopro full c
ftopro bad c d
ftopro q c d
psolve16 a b loc
ls
quit

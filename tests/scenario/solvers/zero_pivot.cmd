zero
zero full r=3 c=3 v=1
ftopro full a loc
input b r=3
1
2
3
psolve a b loc
seti not_reached v=1

zero
zeroc full r=2 c=2
ftopro full a loc
zeroc b r=2
psolve a b loc

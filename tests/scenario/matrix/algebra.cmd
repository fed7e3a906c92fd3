alg
/* a block is added, cut to fit
input a r=3 c=3
1 2 3
4 5 6
7 8 9
input b r=2 c=2
10 20
30 40
add a b r=2 c=3
print a
add a b s r=2 c=2
print s
sub a a
print a
add a b b n=1
print b
zeroi k r=2 c=2 v=3
add a k
add a
add a none
add a s r=4
add a s c=0
/* columns
input d r=2 c=3
1 -5 2
3 4 -7
subcol d d e c=3
print e
subcol d d e c=0
subcol k k e
sumcol d t
print t
sumcol d t -abs
print t
norm d t
print t
norm d t -l2
print t
norm k t
max d t c=2
print t
max d t c=2 -abs
print t
min d t c=3
print t
max d t c=4
input row c=4
nan 3 -8 5
norm row t -max
print t
min row t
print t
/* products
input p r=2 c=3
1 2 3
4 5 6
mult p d q
tmult p d q
print q
mult d q d
print d
mult p p p
mult p k p
mult p
inputc z r=2 c=2
1 1 0 1
2 0 1 -1
mult z z y
print y
tmult z z y
print y
mult_col z z y
print y
col_mult z z y
mult_elem z z y -inv
print y
identi i r=2 c=2
mult k i k
printi k
mult_elem k i k -inv
input v r=2
2
-1
diag_mult v p g
print g
diag_mult p p g
diag_mult v g d
diag_mult v row g
/* a factor
scale g v=4 -inv
print g
scale g v e=2,1
print g
scale g v e=3
scale g k
scale k v=0 -inv
scale k v=2
printi k
setch text s=abc
scale text v=2
ls
quit

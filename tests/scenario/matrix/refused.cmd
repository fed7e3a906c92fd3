job
zero t r=2 c=3 t=4
array3d_slice t new t=5
zeroi k r=2 c=3
array3d_unslice k t t=1
series x x=0,2
zero f r=3 c=1
zero q r=2 c=2
interpolate x f q new
poly q d=1 n=1 option=2 c=1
ls new
quit

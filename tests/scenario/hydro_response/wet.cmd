box
hyd_wet
filein box.txt -noecho
hyd_analysis -no_pot
zero hyd_kstr r=5 c=6
hyd_wet
dir .hyd_wet*
zero hyd_kstr r=6 c=6
hyd_wet form=(i15)
inputi hyd_modemat r=1 c=6
0 0 1 0 0 0
hyd_wet
input hyd_modemat r=1 c=5
0 0 1 0 0
hyd_wet form=i15
input hyd_modemat r=1 c=6
0 0 1 0 0 0
hyd_wet shift=-5 error=42 form=(i15,3x,1pe20.10)
dir .hyd_wet*
cp hyd_mstr mass
scale hyd_mstr v=-10
hyd_wet
dir .hyd_wet*
mv mass hyd_mstr
scale .hyd_kf v=-1
hyd_wet shift=.01
seti .grnfun v=1
hyd_wet
hyd_wet shift=nan
q

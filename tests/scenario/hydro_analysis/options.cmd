box
filein box.txt -noecho
hyd_analysis -double_p -source
hyd_analysis -no_pot
ll .hyd_potrad
hyd_analysis -debug -no_pot
dir .hyd_pd1 .hyd_prad1 .hyd_pic1234
ll .hyd_potrad
zeroc .hyd_iter_work r=20 c=9
hyd_analysis tol=1e-5
rm .hyd_coordaxs
hyd_analysis
print .hyd_freq
q

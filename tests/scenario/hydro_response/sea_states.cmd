sea
hyd_wave_spectra
phyd_wave_spectra
hyd_irregular
hyd_wave_spectra #=8
n=1 name=Bretschneider Hs=4 To=10
n=2 name=ISSC Hs=4 Tv=8
n=3 name=JONSWAP To=10 Xo=100
n=4 name=ITTC Hs=4
n=5 name=P-M-Wind U=20
n=6 name=P-M-Hs Hs=4
n=7 name=Mitsuyasu Xo=1000 U*=1 To=8
n=9 name=ISSC
hyd_parameters h=100 grav=9.81
hyd_wave nbeta=2 nfreq=4 -freq
0 90
.2 .5 1 2
phyd_wave_spectra -spectrum
hyd_irregular tf
inputc tf r=4 c=2
1 0 0 2
1 0 0 2
1 0 0 2
1 0 0 2
hyd_irregular tf
hyd_irregular tf extreme
dir extreme
hyd_irregular tf extreme ext=ext file=none
hyd_irregular tf tf
dir tf
hyd_irregular extreme wrong ext=ext
input .hyd_freq r=4
1
3
2
4
hyd_irregular tf tf ext=no
hyd_wave_spectra #=1
n=1 name=nosuch
q

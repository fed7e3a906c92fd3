box
filein box.txt -noecho
hyd_analysis
hyd_analysis_response
hyd_postresponse -disp -potential -pressure
hyd_modal_pressure digits=3
q
